#pragma once

#include "screencapture/SelectionModel.h"

#include <cstddef>
#include <cstdint>
#include <memory>

struct xkb_context;
struct xkb_keymap;

namespace framora {

/// Which keys mean something to a capture, by their place in the compositor's keymap whatever modifiers are
/// held.
class KeyMeanings {
public:
    KeyMeanings();
    ~KeyMeanings();
    KeyMeanings(const KeyMeanings&) = delete;
    KeyMeanings& operator=(const KeyMeanings&) = delete;

    /// Keeps a keymap as text in a file, which is read when it is needed; `file` is closed.
    void adopt(int file, std::size_t size);
    /// Reads the keymap, some milliseconds; meaning() does it when it was not done.
    void prepare();
    /// `code` as the kernel numbers keys. Without a keymap, as on most keyboards.
    SelectionModel::Key meaning(uint32_t code);

private:
    void forget();

    int m_file = -1;
    std::size_t m_size = 0;
    xkb_context* m_context = nullptr;
    xkb_keymap* m_keymap = nullptr;
};

} // namespace framora
