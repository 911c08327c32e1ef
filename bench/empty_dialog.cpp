// bench_empty_dialog WIDTH HEIGHT FILE: shows an empty modal dialog of that
// size, grabs it into FILE (PNG) once it shows and closes it. The least a
// window of the editor's size costs to show and capture.
#include <QApplication>
#include <QDialog>
#include <QPixmap>
#include <QTimer>

#include <iostream>
#include <string>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 4) {
        std::cerr << "usage: bench_empty_dialog WIDTH HEIGHT FILE\n";
        return 2;
    }
    QDialog dialog;
    dialog.resize(std::stoi(argv[1]), std::stoi(argv[2]));
    bool written = false;
    QTimer::singleShot(0, &dialog, [&] {
        written = dialog.grab().save(QString::fromLocal8Bit(argv[3]), "PNG");
        dialog.done(QDialog::Accepted);
    });
    dialog.exec();
    return written ? 0 : 1;
}
