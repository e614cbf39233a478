// XEmbedWatch where the program was built without xcb.
#include "platform/linux/XEmbedWatch.h"

namespace orrinvale {

class XEmbedWatch::Connection {};

XEmbedWatch::XEmbedWatch(bool /*hasX11*/) {}
XEmbedWatch::~XEmbedWatch() = default;
pollfd XEmbedWatch::toPoll() const { return {-1, 0, 0}; }
void XEmbedWatch::process() {}
std::uint32_t XEmbedWatch::tray() const { return 0; }

}  // namespace orrinvale
