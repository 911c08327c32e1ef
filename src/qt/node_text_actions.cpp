#include "qt/node_text_actions.h"

#include "core/component_error.h"
#include "database/database.h"
#include "nodetext/text_form.h"
#include "session/nodes/apply_nodes.h"
#include "session/nodes/node_text_store.h"

#include <QFile>
#include <QFileDialog>
#include <QMessageBox>

#include <algorithm>
#include <exception>

namespace dbn::qt {

namespace {

const QString kFilter = QStringLiteral("JSON documents (*.json);;All files (*)");

QString ErrorText(const std::exception& error) {
    if (const auto* component = dynamic_cast<const ComponentError*>(&error)) {
        return QString::fromStdString(component->Description());
    }
    return QString::fromStdString(error.what());
}

// A file that cannot be read is an error; one whose nodes cannot be
// applied is told as information.
enum class ProblemBox { Information, Error };

void ShowProblems(QWidget* parent, const QString& file,
                  const std::vector<nodetext::Problem>& problems, ProblemBox kind) {
    QString text;
    for (const nodetext::Problem& problem : problems) {
        text += QString::fromStdString(nodetext::ProblemText(problem)) + QStringLiteral("\n");
    }
    const bool error = kind == ProblemBox::Error;
    QMessageBox box(error ? QMessageBox::Warning : QMessageBox::Information,
                    error ? QStringLiteral("Error") : QStringLiteral("Information"),
                    file + QStringLiteral(" cannot be applied; nothing was written."),
                    QMessageBox::Ok, parent);
    box.setDetailedText(text);
    box.setInformativeText(QString::fromStdString(nodetext::ProblemText(problems.front())));
    box.exec();
}

}  // namespace

void ExportPartitionToFile(QWidget* parent, DataBase& db, session::PartitionKey partition) {
    const QString suggested =
        QStringLiteral("dbn-nodes-%1-%2.json").arg(partition.config).arg(partition.partition);
    const QString path =
        QFileDialog::getSaveFileName(parent, QStringLiteral("Export"), suggested, kFilter);
    if (path.isEmpty()) {
        return;
    }
    try {
        const std::string text =
            nodetext::DocumentText(session::ExportNodes(db, partition.config, partition.partition));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
            file.write(text.data(), static_cast<qint64>(text.size())) !=
                static_cast<qint64>(text.size())) {
            QMessageBox::warning(
                parent, QStringLiteral("Error"),
                path + QStringLiteral(" cannot be written: ") + file.errorString());
        }
    } catch (const std::exception& error) {
        QMessageBox::warning(parent, QStringLiteral("Error"), ErrorText(error));
    }
}

bool ApplyFromFile(QWidget* parent, DataBase& db) {
    const QString path =
        QFileDialog::getOpenFileName(parent, QStringLiteral("Apply From File"), QString(), kFilter);
    if (path.isEmpty()) {
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        QMessageBox::warning(parent, QStringLiteral("Error"),
                             path + QStringLiteral(" cannot be read: ") + file.errorString());
        return false;
    }
    const QByteArray bytes = file.readAll();
    const nodetext::ReadResult read =
        nodetext::ReadDocument(std::string_view(bytes.constData(), bytes.size()));
    if (!read.document) {
        ShowProblems(parent, path, read.problems, ProblemBox::Error);
        return false;
    }
    try {
        session::ApplyOptions options;
        options.dryRun = true;
        const session::ApplyResult planned = session::ApplyNodes(db, *read.document, options);
        if (!planned.problems.empty()) {
            ShowProblems(parent, path, planned.problems, ProblemBox::Information);
            return false;
        }
        const QStringList changes =
            QString::fromStdString(
                session::ApplyReportText(planned, session::ApplyReport::Review, true))
                .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        const QString counts = changes.isEmpty() ? QString() : changes.last();
        const bool writes = std::any_of(planned.nodes.begin(), planned.nodes.end(), [](auto& n) {
            return n.outcome != session::NodeOutcome::Unchanged;
        });
        if (!writes) {
            QMessageBox::information(parent, QStringLiteral("Information"),
                                     QStringLiteral("The file matches the stored nodes; there is "
                                                    "nothing to write."));
            return false;
        }
        QMessageBox question(QMessageBox::Question, QStringLiteral("Confirmation"),
                             QStringLiteral("Write these changes to the configuration database?"),
                             QMessageBox::Yes | QMessageBox::No, parent);
        question.setInformativeText(counts);
        question.setDetailedText(changes.join(QLatin1Char('\n')));
        question.setDefaultButton(QMessageBox::No);
        if (question.exec() != QMessageBox::Yes) {
            return false;
        }
        const session::ApplyResult applied = session::ApplyNodes(db, *read.document, {});
        if (!applied.problems.empty()) {
            ShowProblems(parent, path, applied.problems, ProblemBox::Information);
            return false;
        }
        QMessageBox::information(parent, QStringLiteral("Information"),
                                 QString::fromStdString(session::ApplyReportText(
                                     applied, session::ApplyReport::Written, false)));
        return applied.written;
    } catch (const std::exception& error) {
        QMessageBox::warning(parent, QStringLiteral("Error"), ErrorText(error));
        return false;
    }
}

}  // namespace dbn::qt
