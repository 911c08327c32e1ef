#pragma once

#include <QWidget>

namespace dbn::qt {

// A frame in the highlight colour drawn around a list view while it has the
// focus, so that the operator sees which list the keys go to. It lies over
// the view, lets every mouse event through, and follows the view's size.
class FocusFrame : public QWidget {
public:
    explicit FocusFrame(QWidget& view);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget& view_;
};

}  // namespace dbn::qt
