#include "document/QuestionLine.h"

#include "document/QuestionLabels.h"
#include "platform/base/ShownText.h"
#include "platform/richtext/RichText.h"

namespace pollarix {

QString OnOneLine(const QString& text, qsizetype most) {
    return Shortened(text.left(4 * most).simplified(), most);
}

QString QuestionLine(std::int32_t qType, const QString& QuestionNo, const QString& rtf,
                     qsizetype most) {
    const QString text = OnOneLine(PlainTextOf(rtf), most);
    return PrefixOf(qType, QuestionNo) + (text.isEmpty() ? QString(NoTextYet) : text);
}

} // namespace pollarix
