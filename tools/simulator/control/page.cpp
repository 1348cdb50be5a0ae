#include "control/page.h"

namespace sim {

const std::string_view control_page = R"page(<!doctype html><title>Simulator</title>)page";

} // namespace sim
