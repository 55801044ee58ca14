#include "platform/desktop/SoundModule.h"

#include "platform/desktop/PulseSoundOutput.h"

extern "C" Q_DECL_EXPORT framora::SoundOutput* framora_makeSoundOutput() {
    return std::make_unique<framora::PulseSoundOutput>().release();
}
