// Runs the unattended upgrade as a separate program, so that each test can have its own folder Data, which is
// beside the executable. Usage: upgrade_runner SCRIPT_FOLDER
#include "unattended/automatic_upgrade.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    kv::DoAutomaticUpgrade(argv[1]);
    return 0;
}
