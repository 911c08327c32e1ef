#include "qt/form_fonts.h"

#include "form/gui.h"

#include <QFontDatabase>

namespace dbn::qt {

namespace {

QFont BaseFont() {
    const QString family = QString::fromLatin1(form::GUI::kFontName);
    // Only the answer is kept: a font object must not outlive the application.
    static const bool installed = QFontDatabase::hasFamily(family);
    QFont font;
    if (installed) {
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
    QFont font = BaseFont();
    font.setBold(style != form::FontStyle::Regular);
    font.setUnderline(style == form::FontStyle::BoldUnderlined);
    return font;
}

}  // namespace dbn::qt
