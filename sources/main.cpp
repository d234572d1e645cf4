#include "Log.h"
#include "mainwindow.h"

#include <QApplication>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    MainWindow window;
    window.setWindowTitle(QStringLiteral("Corvane"));
    window.show();
    return QApplication::exec();
}
