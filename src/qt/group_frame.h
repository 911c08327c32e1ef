#pragma once

#include <QFrame>
#include <QString>

namespace dbn::qt {

// A bordered frame whose caption sits on its top edge, so that the frame's
// client area starts at its top-left corner as the form lays out children.
class GroupFrame : public QFrame {
public:
    explicit GroupFrame(QWidget* parent = nullptr);

    const QString& Title() const noexcept { return title_; }
    void SetTitle(const QString& title);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString title_;
};

}  // namespace dbn::qt
