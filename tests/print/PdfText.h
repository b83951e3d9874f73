#pragma once
// A printed PDF read back as text with pdftotext -layout, one text column per 6 points (the pitch of a 10-point
// fixed-pitch face): blanks come back exactly, and the 200-unit margin (1/3 inch) as four of them.
#include "ProgramRun.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

using PdfPages = std::vector<std::vector<std::string>>;

// Each page's lines; with textOnly, blank lines are dropped and trailing blanks cut.
inline PdfPages pdfPages(const std::filesystem::path &pdf, bool textOnly)
{
    ProgramRun text =
        ProgramRun::runTool("pdftotext", {"-layout", "-fixed", "6", pdf.string(), "-"}, pdf.parent_path());
    EXPECT_EQ(text.exitCode, 0) << text.err;
    // pdftotext ends every page, the last one too, with a form feed.
    PdfPages pages(1);
    std::istringstream in(text.out.substr(0, text.out.rfind('\f')));
    for (std::string line; std::getline(in, line);) {
        for (std::size_t feed; (feed = line.find('\f')) != std::string::npos; line.erase(0, feed + 1))
            pages.emplace_back();
        if (textOnly)
            line.erase(line.find_last_not_of(' ') + 1);
        if (!textOnly || !line.empty())
            pages.back().push_back(line);
    }
    return pages;
}
