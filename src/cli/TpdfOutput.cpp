#include "TpdfOutput.h"
#include "MessageSink.h"
#include "OpCodeDefinitions.h"
#include "TInstrDatabase.h"
#include "TdataSet.h"
#include "TinstListingPrinter.h"
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <unistd.h>

namespace {
std::string refusal(const std::string &path)
{
    namespace fs = std::filesystem;
    if (path.empty())
        return "--pdf needs a file name";
    std::error_code error;
    if (fs::is_directory(path, error))
        return path + " is a folder, not a file";
    // Asked before printing, which would only say that the page could not be started.
    fs::path folder = fs::path(path).parent_path();
    const fs::path written = fs::exists(path, error) ? fs::path(path) : folder.empty() ? fs::path(".") : folder;
    if (::access(written.c_str(), W_OK) != 0)
        return "cannot write " + path + ": " + std::strerror(errno);
    return {};
}
} // namespace

bool TpdfOutput::refused(const std::string &prefix, const std::string &path)
{
    const std::string why = refusal(path);
    if (!why.empty())
        std::cerr << prefix << why << "\n";
    return !why.empty();
}

bool TpdfOutput::loadNames(const TdataSet &data, MessageSink &sink, TcategoryMap &categories)
{
    TopCodeTable opCodes;
    if (OpCodeDefinitions::load(data.dataFolder(), opCodes, sink) != 0)
        return false; // throws, after its message, for a corrupt file
    TInstrDatabase::setNames(opCodes);
    if (CategoryDescriptors::load(data.dataFile("catdes.dat"), categories) != 0)
        sink.error(CategoryDescriptors::loadErrorCaption(), CategoryDescriptors::loadErrorText());
    return true;
}

std::unique_ptr<QGuiApplication> TpdfOutput::application()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char program[] = "kt930ctl";
    static char *argv[] = {program, nullptr};
    return std::make_unique<QGuiApplication>(argc, argv);
}

std::unique_ptr<QPrinter> TpdfOutput::printer(const std::string &path)
{
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    TinstListingPrinter::preparePdf(*printer, QString::fromStdString(path));
    return printer;
}
