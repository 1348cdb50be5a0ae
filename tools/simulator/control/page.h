#pragma once

#include <string_view>

namespace sim {

/// The page at the control address, whole: it loads nothing but the state.
extern const std::string_view control_page;

} // namespace sim
