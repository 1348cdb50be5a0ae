#pragma once

#include <string_view>

namespace sim {

/// The whole page at the control address. It loads nothing except the state.
extern const std::string_view control_page;

} // namespace sim
