// Runs the unattended upgrade alone, as a program of its own: the machine that a test makes has its own
// folder, and the program finds its data beside itself. Usage: upgrade_runner SCRIPT_FOLDER
#include "unattended/automatic_upgrade.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    kv::DoAutomaticUpgrade(argv[1]);
    return 0;
}
