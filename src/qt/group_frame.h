#pragma once

#include <QFont>
#include <QFrame>
#include <QString>

namespace dbn::qt {

// A bordered frame whose caption sits on its top edge, so that the frame's
// client area starts at its top-left corner as the form lays out children.
// The caption is painted in its own font; the frame keeps the font it
// inherits, so that its children need no font of their own.
class GroupFrame : public QFrame {
public:
    explicit GroupFrame(QWidget* parent = nullptr);

    const QString& Title() const noexcept { return title_; }
    void SetTitle(const QString& title);
    const QFont& CaptionFont() const noexcept { return captionFont_; }
    void SetCaptionFont(const QFont& font);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString title_;
    QFont captionFont_;
};

}  // namespace dbn::qt
