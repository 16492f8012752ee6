// Must not compile: the drawing library has no widgets.
#include <QWidget>
