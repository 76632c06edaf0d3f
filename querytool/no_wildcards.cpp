// Windows only: makes the C run time leave "*" and "?" in the arguments as they are.
extern "C" {
extern int _dowildcard; // the run time's own name for it
int _dowildcard = 0;
}
