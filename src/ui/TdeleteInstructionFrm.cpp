#include "TdeleteInstructionFrm.h"
#include "ui_TdeleteInstructionFrm.h"
#include "AppDir.h"
#include "TguiText.h"
#include "autosequenceFileStructs.h"
#include <QApplication>
#include <algorithm>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {
// The .asq files of the data folder, sorted by name so the list does not depend on the file system.
std::vector<fs::path> autosequenceFiles(const fs::path &dataFolder)
{
    std::vector<fs::path> files;
    std::error_code ec;
    for (fs::directory_iterator it(dataFolder, ec), end; !ec && it != end; it.increment(ec))
        if (it->path().extension() == ".asq" && it->is_regular_file(ec))
            files.push_back(it->path());
    std::sort(files.begin(), files.end(),
              [](const fs::path &a, const fs::path &b) { return a.filename() < b.filename(); });
    return files;
}

// "<title> - <subtitle>" of a file's header; false when the file cannot be read.
bool headerLine(const fs::path &path, std::string &line)
{
    TautosequenceFile file;
    try {
        if (file.read(path) != 0)
            return false;
    } catch (const TInvalidRead &) {
        return false;
    }
    line = file.title() + " - " + file.subtitle();
    return true;
}
}

TdeleteInstructionFrm::TdeleteInstructionFrm(QWidget *owner)
    : QDialog(owner, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      ui(new Ui::TdeleteInstructionFrm)
{
    // The picture lives in a static library: its resource must be pulled in by hand.
    Q_INIT_RESOURCE(deleteWarning);
    ui->setupUi(this);
    ui->affectedSequences->clear();
    connect(ui->btnYes, &QPushButton::clicked, this, &TdeleteInstructionFrm::btnYesClick);
    connect(ui->btnNo, &QPushButton::clicked, this, &TdeleteInstructionFrm::btnNoClick);
}

TdeleteInstructionFrm::~TdeleteInstructionFrm() = default;

bool TdeleteInstructionFrm::confirmDeletion(std::uint16_t number, const fs::path &appDir, QWidget *owner)
{
    TdeleteInstructionFrm form(owner);
    const std::vector<fs::path> files = autosequenceFiles(TappDir::dataFolder(appDir));
    if (files.empty()) {
        // Nothing can refer to the checkitem: the question is a formality and the answer is ignored.
        form.addLine(QStringLiteral("No Autosequences Found!"));
        form.exec();
        return true;
    }
    for (const fs::path &file : files) {
        std::vector<std::string> names;
        std::string heading;
        if (!TautosequenceFile::findReferences(file, number, names) || !headerLine(file, heading))
            continue;
        form.addLine(TguiText::fromBytes(heading));
        for (const std::string &name : names)
            form.addLine(QStringLiteral("  ") + TguiText::fromBytes(name));
    }
    return form.exec() == QDialog::Accepted;
}

void TdeleteInstructionFrm::addLine(const QString &line)
{
    ui->affectedSequences->appendPlainText(line);
}

void TdeleteInstructionFrm::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    FormShow();
}

void TdeleteInstructionFrm::FormShow()
{
    ui->btnNo->setFocus();
    QApplication::beep();
}

void TdeleteInstructionFrm::btnYesClick()
{
    accept();
}

void TdeleteInstructionFrm::btnNoClick()
{
    reject();
}
