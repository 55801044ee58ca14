#include <atomic>
#include <hwy/highway.h>

// What Highway's dispatch asks at run time: which vector units there are, and which one is used. Its shared
// library answers too, but measures a clock when it is loaded, which takes every program that links it four
// milliseconds of its start.
namespace hwy {
namespace {

std::atomic<std::int64_t> forcedTargets = 0;

std::int64_t detectedTargets() {
    std::int64_t targets = HWY_ENABLED_BASELINE;
#if HWY_ARCH_X86
    // Each needs what those before it need.
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("ssse3"))
        return targets;
    targets |= HWY_SSSE3;
    if (!(__builtin_cpu_supports("sse4.1") && __builtin_cpu_supports("sse4.2") &&
          __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("aes")))
        return targets;
    targets |= HWY_SSE4;
    if (!(__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
          __builtin_cpu_supports("fma") && __builtin_cpu_supports("f16c") && __builtin_cpu_supports("lzcnt")))
        return targets;
    targets |= HWY_AVX2;
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw"))
        targets |= HWY_AVX3;
#endif
    return targets;
}

} // namespace

std::int64_t SupportedTargets() {
    static const std::int64_t detected = detectedTargets();
    const std::int64_t forced = forcedTargets.load(std::memory_order_relaxed);
    return forced != 0 ? forced : detected;
}

void SetSupportedTargetsForTest(std::int64_t targets) {
    forcedTargets.store(targets, std::memory_order_relaxed);
}

ChosenTarget& GetChosenTarget() {
    static ChosenTarget chosen;
    return chosen;
}

} // namespace hwy
