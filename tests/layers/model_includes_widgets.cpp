// Must not compile: the model has no widgets.
#include <QWidget>
