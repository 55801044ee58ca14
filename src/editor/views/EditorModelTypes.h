#pragma once

#include "editor/model/ScreenshotEditorViewModel.h"

#include <QtQml/qqml.h>

// The model's types as this module knows them; the model itself knows nothing of QML.

struct ScreenshotEditorViewModelForeign {
    Q_GADGET
    QML_FOREIGN(framora::ScreenshotEditorViewModel)
    QML_NAMED_ELEMENT(ScreenshotEditorViewModel)
    QML_UNCREATABLE("Made with the editor window")
};

struct ScreenshotStyleConfigForeign {
    Q_GADGET
    QML_FOREIGN(framora::ScreenshotStyleConfig)
    QML_VALUE_TYPE(screenshotStyleConfig)
};

struct SimpleGradientConfigForeign {
    Q_GADGET
    QML_FOREIGN(framora::SimpleGradientConfig)
    QML_VALUE_TYPE(simpleGradientConfig)
};

struct SizeForeign {
    Q_GADGET
    QML_FOREIGN(framora::Size)
    QML_VALUE_TYPE(styleSize)
};
