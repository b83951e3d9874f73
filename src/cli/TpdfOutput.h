#pragma once
// What the printing subcommands share: a GUI application for fonts and the PDF
// engine (never a screen), and a printer that writes the PDF file.
#include "CategoryDescriptors.h"
#include <QGuiApplication>
#include <QPrinter>
#include <memory>
#include <string>

class MessageSink;
class TdataSet;

class TpdfOutput {
public:
    // Whether path cannot be written to; when so, says why on stderr after prefix
    // ("kt930ctl <command>: ").
    static bool refused(const std::string &prefix, const std::string &path);
    // The offscreen platform unless the caller chose another one.
    static std::unique_ptr<QGuiApplication> application();
    // The op-code names for the name look-ups and the category names, as the editors
    // show them. False when the definition files are missing (after the message); a
    // missing catdes.dat is reported and leaves bare letters.
    static bool loadNames(const TdataSet &data, MessageSink &sink, TcategoryMap &categories);
    // An A4 PDF printer at 600 dpi writing to path.
    static std::unique_ptr<QPrinter> printer(const std::string &path);
};
