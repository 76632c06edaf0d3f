// Windows only: keeps the C run time from replacing arguments that contain "*" or "?" by the names of files.
extern "C" {
extern int _dowildcard; // the C run time reads this variable before main
int _dowildcard = 0;
}
