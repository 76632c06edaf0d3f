// A program that shows an empty window of Qt. Its start takes the shortest time that a program with a window
// of Qt can take. With an argument the window shows that text; Qt reads the fonts for the first text.
// window_bench.cpp starts it.
#include <QApplication>
#include <QLabel>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(642, 512);
    QLabel text(argc > 1 ? argv[1] : "", &window);
    text.setVisible(argc > 1);
    window.show();
    return QApplication::exec();
}
