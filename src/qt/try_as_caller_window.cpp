#include "qt/try_as_caller_window.h"

#include "form/gui.h"
#include "qt/focus_frame.h"
#include "qt/form_view.h"
#include "qt/tool_window.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

namespace dbn::qt {
namespace {

// The keypad as a telephone shows it, row by row.
constexpr char kKeypad[] = "123456789*0#";

// "Key 5", "Key star", "Key pound": a name for each keypad button.
QString KeyName(char key) {
    if (key == '*') {
        return QStringLiteral("Key star");
    }
    if (key == '#') {
        return QStringLiteral("Key pound");
    }
    return QStringLiteral("Key %1").arg(QChar(key));
}

// The keypad key a keyboard key stands for, or '\0'.
char KeypadKeyOf(const QKeyEvent& event) {
    if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        return '\0';
    }
    const QString text = event.text();
    if (text.size() == 1) {
        const char c = text.at(0).toLatin1();
        if ((c >= '0' && c <= '9') || c == '*' || c == '#') {
            return c;
        }
    }
    return '\0';
}

QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

TryAsCallerWindow::TryAsCallerWindow(form::GUI& form, QWidget* parent)
    : QWidget(parent, Qt::Window),
      form_(form),
      trial_(form),
      transcript_(new QPlainTextEdit(this)),
      matches_(new QListWidget(this)),
      state_(new QLabel(this)) {
    setWindowTitle(kTitle);
    transcript_->setReadOnly(true);
    transcript_->setAccessibleName(QStringLiteral("Transcript"));
    matches_->setAccessibleName(QStringLiteral("Current matches"));
    state_->setAccessibleName(QStringLiteral("State of the call"));
    state_->setWordWrap(true);
    state_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // Neither view shows the focus on its own.
    new FocusFrame(*transcript_);  // owned by the transcript
    new FocusFrame(*matches_);     // owned by the list

    auto* transcriptLabel = new QLabel(QStringLiteral("&Transcript:"), this);
    transcriptLabel->setBuddy(transcript_);
    auto* matchesLabel = new QLabel(QStringLiteral("Current &matches:"), this);
    matchesLabel->setBuddy(matches_);

    auto* left = new QVBoxLayout;
    left->addWidget(transcriptLabel);
    left->addWidget(transcript_, 3);
    left->addWidget(state_);
    left->addWidget(matchesLabel);
    left->addWidget(matches_, 1);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(left, 1);
    layout->addWidget(MakeKeypad(), 0, Qt::AlignTop);
    resize(760, 520);

    CloseOnKeys(*this);
    // The keyboard works as the keypad wherever the focus is in the window.
    installEventFilter(this);
    for (QWidget* child : findChildren<QWidget*>()) {
        child->installEventFilter(this);
    }
    WatchForm();
    Restart();
}

TryAsCallerWindow::~TryAsCallerWindow() {
    for (auto& [control, id] : observers_) {
        control->Unobserve(id);
    }
    form_.Unobserve(formObserver_);
}

QWidget* TryAsCallerWindow::MakeKeypad() {
    auto* pad = new QWidget(this);
    auto* grid = new QGridLayout(pad);
    grid->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; kKeypad[i] != '\0'; ++i) {
        const char key = kKeypad[i];
        auto* button = new QPushButton(QString(QChar(key)), pad);
        button->setAccessibleName(KeyName(key));
        button->setAutoDefault(false);
        button->setMinimumSize(56, 40);
        connect(button, &QPushButton::clicked, this, [this, key] { Press(key); });
        grid->addWidget(button, i / 3, i % 3);
    }
    auto* silence = new QPushButton(QStringLiteral("&Silence"), pad);
    silence->setAccessibleName(QStringLiteral("Silence"));
    silence->setToolTip(QStringLiteral("Let the time-out pass without a key"));
    connect(silence, &QPushButton::clicked, this, [this] { Press('\0'); });
    auto* restart = new QPushButton(QStringLiteral("&Restart"), pad);
    restart->setAccessibleName(QStringLiteral("Restart"));
    connect(restart, &QPushButton::clicked, this, [this] { Restart(); });
    for (QPushButton* button : {silence, restart}) {
        button->setAutoDefault(false);
    }
    grid->addWidget(silence, 4, 0, 1, 3);
    grid->addWidget(restart, 5, 0, 1, 3);
    return pad;
}

// Any change of a value, a list's selection or a list's rows may change the
// call; the plan is read again once the change is over.
void TryAsCallerWindow::WatchForm() {
    for (form::Control* control : form_.Controls()) {
        const int id = control->Observe([this](form::Control&, form::ChangeAspect aspect) {
            if (aspect != form::ChangeAspect::Text && aspect != form::ChangeAspect::Selection &&
                aspect != form::ChangeAspect::Rows) {
                return;
            }
            if (!refreshPending_) {
                refreshPending_ = true;
                QTimer::singleShot(0, this, [this] {
                    refreshPending_ = false;
                    FollowForm();
                });
            }
        });
        observers_.emplace_back(control, id);
    }
    formObserver_ = form_.Observe([this](form::FormChange change) {
        if (change == form::FormChange::Loaded && isVisible()) {
            Restart();
        }
    });
}

void TryAsCallerWindow::Press(char key) {
    directory::CallEvent event{key};
    if (trial_.Answer(event)) {
        ShowCall();
    }
}

void TryAsCallerWindow::Restart() {
    trial_.Refresh(true);
    ShowCall();
}

void TryAsCallerWindow::FollowForm() {
    if (form_.IsLoaded() && isVisible() && trial_.Refresh()) {
        ShowCall();
    }
}

void TryAsCallerWindow::ShowCall() {
    matches_->clear();
    if (!trial_.Problem().empty()) {
        transcript_->setPlainText(Text(trial_.Problem()));
        state_->clear();
        return;
    }
    transcript_->setPlainText(Text(trial_.Transcript()));
    transcript_->verticalScrollBar()->setValue(transcript_->verticalScrollBar()->maximum());
    if (trial_.Steps().empty()) {
        state_->clear();
        return;
    }
    const directory::CallStep& step = trial_.Steps().back();
    state_->setText(Text(directory::StateText(step)));
    for (std::size_t i = 0; i < step.matches.size(); ++i) {
        QString line = Text(directory::MatchText(step.matches[i]));
        if (step.stage == directory::CallStage::Confirmation) {
            line = QStringLiteral("%1  %2").arg(i + 1).arg(line);
        }
        matches_->addItem(line);
    }
}

QString TryAsCallerWindow::Transcript() const {
    return transcript_->toPlainText();
}

QStringList TryAsCallerWindow::Matches() const {
    QStringList lines;
    for (int i = 0; i < matches_->count(); ++i) {
        lines << matches_->item(i)->text();
    }
    return lines;
}

QString TryAsCallerWindow::State() const {
    return state_->text();
}

bool TryAsCallerWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const char key = KeypadKeyOf(static_cast<QKeyEvent&>(*event));
        if (key != '\0') {
            Press(key);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

TryAsCallerWindow& ShowTryAsCaller(FormView& view) {
    auto* window = view.findChild<TryAsCallerWindow*>();
    if (window == nullptr) {
        window = new TryAsCallerWindow(view.Form(), &view);
    } else {
        window->Restart();
    }
    BringToFront(*window);
    return *window;
}

}  // namespace dbn::qt
