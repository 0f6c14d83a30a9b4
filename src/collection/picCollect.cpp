#include "collection/picCollect.h"

#include <QLabel>

#include "collection/picRespondentList.h"
#include "platform/controls/ScreenTitle.h"
#include "platform/controls/Twips.h"

namespace pollarix {

picCollect::picCollect(ApplicationState& state, QWidget* parent) : QWidget(parent) {
    setObjectName("picCollect");
    picTitleCollect_ = NewScreenTitle("picTitleCollect", "Data Collection", this);
    lblInstructions_ = NewInstructions(
        "Instructions - You are currently viewing a list of Respondents, these are surveys that "
        "have previously been completed. To add a new Respondent press the 'Add Respondent' "
        "button. For more help press F1.",
        this);
    picRespondentList_ = new pollarix::picRespondentList(state, this);
}

void picCollect::LayOut(int windowWidth, int windowHeight) {
    picTitleCollect_->setGeometry(0, 0, width(), ScreenTitleHeight);
    const int left = ToPixels(120);
    const int textWidth = width() - left - ToPixels(150);
    if (textWidth > 0)
        lblInstructions_->setGeometry(left, ScreenTitleHeight + ToPixels(60), textWidth,
                                      lblInstructions_->heightForWidth(textWidth) + ToPixels(300));
    const int top = lblInstructions_->geometry().bottom() + 1 - ToPixels(200);
    picRespondentList_->setGeometry(0, top, width(), height());
    picRespondentList_->LayOut(windowWidth, windowHeight, height() - top);
}

} // namespace pollarix
