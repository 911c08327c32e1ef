#include "qt/missing_database_offer.h"

#include "database/database_setup.h"

#include <QMessageBox>
#include <QPushButton>

namespace dbn::qt {

bool OfferToCreateDatabase(const std::string& path) {
    QMessageBox box(QMessageBox::Question, QStringLiteral("Confirmation"),
                    QStringLiteral("There is no configuration database at %1.\n\n"
                                   "Create the demo database there, or an empty one?")
                        .arg(QString::fromStdString(path)));
    QPushButton* demo =
        box.addButton(QStringLiteral("Create &Demo Database"), QMessageBox::AcceptRole);
    QPushButton* empty =
        box.addButton(QStringLiteral("Create &Empty Database"), QMessageBox::AcceptRole);
    box.addButton(QStringLiteral("&Quit"), QMessageBox::RejectRole);
    box.setDefaultButton(demo);
    box.exec();
    if (box.clickedButton() != demo && box.clickedButton() != empty) {
        return false;
    }
    CreateConfigurationDatabase(path, box.clickedButton() == demo);
    return true;
}

}  // namespace dbn::qt
