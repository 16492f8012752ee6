#include "aboutdialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace kesu::toolvok {

AboutDialog::AboutDialog(const QString& name, const QString& title, const QIcon& icon, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(QStringLiteral("About %1").arg(title));
    auto* picture = new QLabel(this);
    picture->setPixmap(icon.pixmap(64, 64));
    picture->setAlignment(Qt::AlignTop);
    auto* text = new QLabel(this);
    text->setObjectName(QStringLiteral("aboutText"));
    text->setTextFormat(Qt::RichText);
    text->setText(QStringLiteral(
        "<h3>%1</h3><p>Version %2</p>"
        "<p>Draws the stimulus waveforms of a digital design: signals, buses and named "
        "patterns, and exports them as Verilog and VHDL test benches.</p>")
                      .arg(name.toHtmlEscaped(), QStringLiteral(VOK_VERSION)));
    text->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* row = new QHBoxLayout;
    row->addWidget(picture);
    row->addWidget(text, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(buttons);
    setMinimumWidth(360);
}

} // namespace kesu::toolvok
