// A program outside the source tree, as a user of the installed library writes it.

#include <QXFoundation/export.h>

int main() { return 0; }
