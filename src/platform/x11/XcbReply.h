#pragma once

#include <cstdlib>
#include <memory>

namespace framora {

/// Deleter of what xcb hands out.
struct XcbFree {
    void operator()(void* memory) const { std::free(memory); }
};
/// A reply, an event or an error: xcb gives them as malloc'ed memory.
template <class Reply> using XcbReply = std::unique_ptr<Reply, XcbFree>;

} // namespace framora
