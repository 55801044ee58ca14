#pragma once

namespace framora {

/// What the next click or drag takes.
enum class CaptureMode { Area, Window };

} // namespace framora
