#pragma once

#include <QString>
#include <QStringView>
#include <array>
#include <optional>

namespace framora {

/// The cases of a string-valued enumeration in their order; each enumeration specialises it with
/// `static constexpr std::array cases{RawCase{E::a, u"a"}, ...}`.
template <class E> struct RawEnum;

template <class E> struct RawCase {
    E value;
    QStringView raw;
};

/// Every case, in declaration order.
template <class E> constexpr auto allCases() {
    std::array<E, RawEnum<E>::cases.size()> values{};
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = RawEnum<E>::cases[i].value;
    return values;
}

/// The stable string of a case.
template <class E> QString rawValue(E value) {
    for (const auto& entry : RawEnum<E>::cases)
        if (entry.value == value)
            return entry.raw.toString();
    return {};
}

/// The case of a string, nothing when there is none; case-sensitive.
template <class E> std::optional<E> fromRawValue(QStringView raw) {
    for (const auto& entry : RawEnum<E>::cases)
        if (entry.raw == raw)
            return entry.value;
    return std::nullopt;
}

} // namespace framora
