#pragma once
// Conversions between .asq file objects and the in-memory collections.
#include "TTestProc.h"
#include "Tautosequence.h"
#include "autosequenceFileStructs.h"
#include <vector>

namespace AutosequenceConversions {
void inspectionsToFile(const std::vector<Tautosequence> &inspections, TautosequenceFile &file);
void userTestersToFiles(const std::vector<TuserTester> &testers, std::vector<TautosequenceFile> &files);
void userTesterToFile(const TuserTester &tester, TautosequenceFile &file);
void fileToInspections(const TautosequenceFile &file, std::vector<Tautosequence> &inspections);
TuserTester fileToUserTester(const TautosequenceFile &file);
// Keeps the deliberate results: 6 testers for 1..4 files, none for 0 files.
void filesToUserTesters(const std::vector<TautosequenceFile> &files, std::vector<TuserTester> &testers);
void fileToChecklists(const TautosequenceFile &file, TTestProcList &checklists);
void checklistsToFile(const TTestProcList &checklists, TautosequenceFile &file);
}
