#include "qt/form_fonts.h"

#include "form/gui.h"

#include <QFontDatabase>

namespace dbn::qt {

namespace {

QFont BaseFont() {
    const QString family = QString::fromLatin1(form::GUI::kFontName);
    QFont font;
    if (QFontDatabase::hasFamily(family)) {
        font.setFamily(family);
    } else {
        // The platform's sans-serif, in its condensed cut where it has one:
        // the form's face is a narrow one, and its captions are sized to it.
        font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
        font.setStyleHint(QFont::SansSerif);
        font.setStretch(QFont::Condensed);
    }
    font.setPointSizeF(form::GUI::kFontPoints);
    return font;
}

}  // namespace

QFont FormFont(form::FontStyle style) {
    static const QFont base = BaseFont();
    QFont font = base;
    font.setBold(style != form::FontStyle::Regular);
    font.setUnderline(style == form::FontStyle::BoldUnderlined);
    return font;
}

}  // namespace dbn::qt
