#pragma once

#include "platform/DesktopPictures.h"
#include "platform/Screens.h"

namespace framora {

/// What the running desktop's own settings say: GNOME and its kin, Cinnamon, MATE, XFCE, KDE Plasma, LXQt. No
/// pictures on any other.
class ConfiguredDesktopPictures final : public DesktopPictures {
public:
    explicit ConfiguredDesktopPictures(Screens& screens) : m_screens(screens) {}
    Lookup lookup() override;

private:
    Screens& m_screens;
};

} // namespace framora
