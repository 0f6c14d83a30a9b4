// A survey file and a short script that damages it. Most changes to the bytes of a database only
// break its header; a script reaches what lies behind: values, rows, tables, triggers. What is
// left over of the input are bytes to write over the finished file.
#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <span>

namespace pollarix::fuzz {

// Takes values from the front of the input; zeros when it is used up.
class Script {
  public:
    explicit Script(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
    bool AtEnd() const { return bytes_.empty(); }
    std::uint8_t Byte();
    std::uint32_t Word() { return Byte() << 8 | Byte(); }
    // Less than the bound, which is not 0.
    std::size_t Below(std::size_t bound) { return Byte() % bound; }
    // A length and as many bytes.
    QByteArray Text();

  private:
    std::span<const std::uint8_t> bytes_;
};

// The bytes of a survey with every kind of question, jumps, a scale and respondents. A loose one
// has the same tables without the checks on types and Nulls that a file from elsewhere need not
// have.
QByteArray BaseSurvey(bool loose);

// Runs the rest of the script on the file. Steps that the database refuses are passed over. True if
// all that was changed are rows, which the tables have checked.
bool Damage(const QString& path, Script& script);

} // namespace pollarix::fuzz
