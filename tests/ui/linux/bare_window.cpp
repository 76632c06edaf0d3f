// A program that shows an empty window of Qt: the least that a program with a window of these libraries takes
// to start. With an argument the window has that text: Qt reads the fonts at the first text. window_bench.cpp
// starts it.
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
