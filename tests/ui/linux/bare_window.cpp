// A program that shows an empty window of Qt: the least that a program with a window of these libraries takes
// to start. window_bench.cpp starts it.
#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(642, 512);
    window.show();
    return QApplication::exec();
}
