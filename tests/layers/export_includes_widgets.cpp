// Must not compile: the export library has no widgets.
#include <QWidget>
