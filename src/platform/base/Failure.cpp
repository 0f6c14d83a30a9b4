#include "platform/base/Failure.h"

#include <cmath>
#include <limits>
#include <utility>

namespace pollarix {

namespace {

QString DescriptionOf(int number) {
    switch (number) {
    case failure::InvalidArgument:
        return "Invalid argument";
    case failure::Overflow:
        return "Overflow";
    case failure::Subscript:
        return "Subscript out of range";
    case failure::TypeMismatch:
        return "Type mismatch";
    case failure::FileNotFound:
        return "File not found";
    case failure::PathOrFileAccess:
        return "Path or file access failed";
    case failure::NoObject:
        return "No object";
    case failure::InvalidNull:
        return "Invalid use of Null";
    case failure::NoCurrentRecord:
        return "No current record";
    case failure::DialogCancelled:
        return "Cancelled";
    default:
        return "Failure";
    }
}

template <typename Narrow> Narrow Narrowed(std::int64_t value) {
    if (value < std::numeric_limits<Narrow>::min() || value > std::numeric_limits<Narrow>::max())
        throw Failure(failure::Overflow);
    return static_cast<Narrow>(value);
}

} // namespace

Failure::Failure(int number, QString description, QString source)
    : number_(number),
      description_(description.isEmpty() ? DescriptionOf(number) : std::move(description)),
      source_(std::move(source)), utf8_(description_.toUtf8()) {}

std::int16_t Narrow16(std::int64_t value) {
    return Narrowed<std::int16_t>(value);
}

std::int32_t Narrow32(std::int64_t value) {
    return Narrowed<std::int32_t>(value);
}

std::int64_t ToNumber64(const QString& text) {
    const QString trimmed = text.trimmed();
    bool ok = false;
    if (const qlonglong whole = trimmed.toLongLong(&ok); ok)
        return whole;
    const double real = trimmed.toDouble(&ok);
    if (!ok || !std::isfinite(real))
        throw Failure(failure::TypeMismatch, QString("\"%1\" is not a number").arg(text.left(80)));
    const double rounded = std::nearbyint(real);
    if (rounded < -9.2e18 || rounded > 9.2e18)
        throw Failure(failure::Overflow);
    return static_cast<std::int64_t>(rounded);
}

std::int16_t ToNumber16(const QString& text) {
    return Narrow16(ToNumber64(text));
}

std::int32_t ToNumber32(const QString& text) {
    return Narrow32(ToNumber64(text));
}

} // namespace pollarix
