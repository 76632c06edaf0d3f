// A program of user32 alone that shows an empty window: the least that a program with a window takes to
// start. window_bench.cpp starts it.
#include "ui/windows/bare_window.h"

int main() {
    return ShowBareWindow("KVBareWindow");
}
