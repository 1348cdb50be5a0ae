// Every group of operations in every form, as C++17 takes it. It is only compiled, by scripts/test.

#include "orva.hpp"

static_assert (__cplusplus == 201703L, "this file is for the oldest language that the header supports");

namespace orva {

// All that is no template.
template class ServerControl<throwing>;
template class ServerControl<returning>;
template class ServerControl<futures>;
template class ChannelControl<throwing>;
template class ChannelControl<returning>;
template class ChannelControl<futures>;
template class GangControl<throwing>;
template class GangControl<returning>;
template class GangControl<futures>;
template class ClipControl<throwing>;
template class ClipControl<returning>;
template class ClipControl<futures>;
template class VirtualClipControl<throwing>;
template class VirtualClipControl<returning>;
template class VirtualClipControl<futures>;
template class StoreControl<throwing>;
template class StoreControl<returning>;
template class StoreControl<futures>;
template class QueueOf<Event>;

} // namespace orva
