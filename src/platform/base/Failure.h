// The one exception type of the program, the numbers it knows, and the checked conversions that
// raise them. Not for showing failures: that is the business of Handlers.h and the callers.
#pragma once

#include <QString>

#include <cstdint>
#include <exception>

namespace pollarix {

// Numbers of the failures that handlers compare or show. A database failure carries SQLite's
// extended result code instead, which is never one of these together with the source "SQLite".
namespace failure {
constexpr int InvalidArgument = 5;
constexpr int Overflow = 6;
constexpr int Subscript = 9;
constexpr int TypeMismatch = 13;
constexpr int FileNotFound = 53;
constexpr int PathOrFileAccess = 75;
constexpr int NoObject = 91;
constexpr int InvalidNull = 94;
constexpr int NoCurrentRecord = 3021;
constexpr int DialogCancelled = 32755;
} // namespace failure

class Failure : public std::exception {
  public:
    // With no description given, the number's own stands ("Overflow", "Type mismatch", ...).
    explicit Failure(int number, QString description = {}, QString source = "Pollarix");

    int Number() const { return number_; }
    const QString& Description() const { return description_; }
    const QString& Source() const { return source_; }
    const char* what() const noexcept override { return utf8_.constData(); }

  private:
    int number_;
    QString description_;
    QString source_;
    QByteArray utf8_;
};

// Narrows to a 16-bit signed integer; throws Overflow beyond -32768..32767.
std::int16_t Narrow16(std::int64_t value);

// Narrows to a 32-bit signed integer; throws Overflow beyond its range.
std::int32_t Narrow32(std::int64_t value);

// Text to number: blanks around it are dropped, a fraction is rounded half to even. Throws
// TypeMismatch for what is no decimal number, Overflow beyond the type's range.
std::int16_t ToNumber16(const QString& text);
std::int32_t ToNumber32(const QString& text);
std::int64_t ToNumber64(const QString& text);

} // namespace pollarix
