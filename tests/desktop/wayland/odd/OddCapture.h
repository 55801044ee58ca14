#pragma once

#include "desktop/support/CaptureDescriptors.h"
#include "desktop/support/ScriptedCompositor.h"

#include <gtest/gtest.h>

namespace framora {

/// The capture tool on a compositor that answers as a test tells it.
class OddCapture {
public:
    explicit OddCapture(CompositorScript script = {}) : compositor(std::move(script)) {}
    /// Nothing may be left of the tool: no process, no surface, no connection, no file.
    ~OddCapture();

    /// Starts the tool without waiting for anything.
    ChildProcess& launch(const QString& mode = QStringLiteral("-i"));
    /// Starts it and returns when each of these outputs shows the overlay; null when it ended instead.
    ChildProcess* open(const QStringList& outputs = {QStringLiteral("ONE")});
    bool overlayOn(const QString& output) { return !compositor.shown(output).isNull(); }
    /// Selects an area, in logical pixels of that output.
    void drag(QPoint from, QPoint to, const QString& output = QStringLiteral("ONE"));
    /// What the tool left on the clipboard.
    QImage clipboard();

    /// The tool ends by itself with that code within `milliseconds`, and not without a word where it failed:
    /// one line, with this text in it.
    testing::AssertionResult endsWith(int code, const char* text = "", int milliseconds = 10000);
    testing::AssertionResult isCancelled() { return endsWith(1); }
    /// It ends without a picture: cancelled, or failed with one line.
    testing::AssertionResult givesUp();
    testing::AssertionResult takes(QRect area, const QImage& expected,
                                   const QString& output = QStringLiteral("ONE"));

    ScriptedCompositor compositor;
    CaptureDescriptors descriptors;

private:
    ChildProcess* m_tool = nullptr;
};

/// Every pixel the same.
testing::AssertionResult samePixels(const QImage& actual, const QImage& expected);

} // namespace framora
