#include "screencapture/wayland/KeyMeanings.h"

#include <cstring>
#include <linux/input-event-codes.h>
#include <sys/mman.h>
#include <unistd.h>
#include <xkbcommon/xkbcommon.h>

namespace framora {

namespace {

using Key = SelectionModel::Key;

Key meaningOf(xkb_keysym_t symbol) {
    switch (symbol) {
    case XKB_KEY_Escape:
        return Key::Escape;
    case XKB_KEY_space:
        return Key::Space;
    case XKB_KEY_Shift_L:
    case XKB_KEY_Shift_R:
        return Key::Shift;
    default:
        return Key::Other;
    }
}

Key usualMeaning(uint32_t code) {
    switch (code) {
    case KEY_ESC:
        return Key::Escape;
    case KEY_SPACE:
        return Key::Space;
    case KEY_LEFTSHIFT:
    case KEY_RIGHTSHIFT:
        return Key::Shift;
    default:
        return Key::Other;
    }
}

} // namespace

KeyMeanings::KeyMeanings() = default;

KeyMeanings::~KeyMeanings() {
    forget();
    if (m_context)
        xkb_context_unref(m_context);
}

void KeyMeanings::forget() {
    if (m_file >= 0)
        close(m_file);
    m_file = -1;
    if (m_keymap)
        xkb_keymap_unref(m_keymap);
    m_keymap = nullptr;
}

void KeyMeanings::adopt(int file, std::size_t size) {
    forget();
    m_file = file;
    m_size = size;
}

void KeyMeanings::prepare() {
    if (m_file < 0)
        return;
    void* text = mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, m_file, 0);
    close(m_file);
    m_file = -1;
    if (text == MAP_FAILED)
        return;
    if (!m_context)
        m_context = xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES);
    if (m_context) {
        // A keymap that cannot be read is no reason to print anything: the usual keys do.
        xkb_context_set_log_level(m_context, XKB_LOG_LEVEL_CRITICAL);
        // The text ends with a zero, which is not of the keymap.
        const auto length = strnlen(static_cast<const char*>(text), m_size);
        m_keymap = xkb_keymap_new_from_buffer(m_context, static_cast<const char*>(text), length,
                                              XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS);
    }
    munmap(text, m_size);
}

Key KeyMeanings::meaning(uint32_t code) {
    prepare();
    if (!m_keymap)
        return usualMeaning(code);
    constexpr uint32_t kKernelToKeymap = 8;
    const xkb_keycode_t key = code + kKernelToKeymap;
    const xkb_layout_index_t layouts = xkb_keymap_num_layouts_for_key(m_keymap, key);
    for (xkb_layout_index_t layout = 0; layout < layouts; ++layout) {
        // What a key means by itself: some layouts have Escape and space on further levels of letters.
        const xkb_keysym_t* symbols = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(m_keymap, key, layout, 0, &symbols);
        for (int i = 0; i < count; ++i)
            if (const Key meaning = meaningOf(symbols[i]); meaning != Key::Other)
                return meaning;
    }
    return Key::Other;
}

} // namespace framora
