#pragma once
// How a member of the control runs its work: an error raised inside is reported through the
// control's exception signal and the member returns its empty result.
#include <exception>
#include <type_traits>

#include "IClass.h"
#include "base/KestrinError.h"

namespace kestrin {

template <class Fn>
auto IClass::guarded(Fn&& work) -> decltype(work()) {
    using Result = decltype(work());
    try {
        return work();
    } catch (const KestrinError& e) {
        raise(e.number(), QString::fromStdString(e.source()), QString::fromStdString(e.description()));
    } catch (const std::exception& e) {
        raise(kErrInvalidCall, QStringLiteral("iClass UserControl"), QString::fromLocal8Bit(e.what()));
    }
    if constexpr (!std::is_void_v<Result>) return Result{};
}

}  // namespace kestrin
