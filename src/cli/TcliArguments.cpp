#include "TcliArguments.h"
#include "AppDir.h"
#include <charconv>

bool TcliArguments::parse(const std::vector<std::string> &arguments, const std::set<std::string> &knownFlags,
                          std::size_t positionalCount, std::string &why, const std::set<std::string> &valueOptions)
{
    // The value of an option is the next argument, unless that is an option itself:
    // "--pdf --appdir DIR" would otherwise print to a file named "--appdir".
    auto hasValue = [&](std::size_t i, const std::string &missing) {
        if (i + 1 < arguments.size() && arguments[i + 1].rfind("--", 0) != 0)
            return true;
        why = missing;
        return false;
    };
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            help = true;
            return true;
        }
        if ((argument == "--appdir" && appDirGiven) || options.contains(argument)) {
            why = argument + " is given twice";
            return false;
        }
        if (argument == "--appdir") {
            if (!hasValue(i, "--appdir needs a folder"))
                return false;
            appDir = arguments[++i];
            appDirGiven = true;
        } else if (valueOptions.contains(argument)) {
            if (!hasValue(i, argument + " needs a value"))
                return false;
            options[argument] = arguments[++i];
        } else if (knownFlags.contains(argument)) {
            flags.insert(argument);
        } else if (argument.size() > 1 && argument[0] == '-') {
            why = "unknown option " + argument;
            return false;
        } else {
            positional.push_back(argument);
        }
    }
    if (positional.size() != positionalCount) {
        why = positionalCount
                  ? "expected " + std::to_string(positionalCount) + (positionalCount > 1 ? " arguments" : " argument")
                  : "unexpected argument " + positional.front();
        return false;
    }
    folders = TappDir::folders();
    if (appDirGiven) {
        folders.application = appDir;
        folders.reason = "--appdir was given";
    }
    appDir = folders.application;
    return true;
}

std::size_t TcliArguments::oneBased(const std::string &text, std::size_t count)
{
    std::size_t number = 0;
    auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || number < 1 || number > count)
        return 0;
    return number;
}
