#pragma once
// The byte images of the data set that travel to and from the analyzer.
#include "TInstrDatabase.h"
#include "TTestProc.h"
#include "Tautosequence.h"
#include <cstddef>
#include <cstdint>
#include <vector>

namespace TransferImages {
constexpr std::size_t BlockSize = 264;
constexpr std::size_t CheckitemBlocks = 174, ChecklistBlocks = 500, AutosequenceBlocks = 27;
constexpr std::size_t CheckitemBytes = CheckitemBlocks * BlockSize;       // 45936
constexpr std::size_t ChecklistBytes = ChecklistBlocks * BlockSize;       // 132000
constexpr std::size_t AutosequenceBytes = AutosequenceBlocks * BlockSize; // 7128
constexpr std::size_t ChecklistSlot = 264;
constexpr std::size_t InspectionCount = 18;
constexpr std::size_t TesterSequencesOffset = 1584;
constexpr std::size_t TesterNamesOffset = 6864;
constexpr std::size_t TesterNameWidth = 21;

// Fill an area from the containers (upload side).
void packCheckitems(const TInstrDatabase &db, std::uint8_t *area);
void packChecklists(const TTestProcList &checklists, std::uint8_t *area);
void packAutosequences(const std::vector<Tautosequence> &inspections,
                       const std::vector<TuserTester> &testers, std::uint8_t *area);

// Replace the containers from an area (download side), through the cleaning copies:
// 1044 checkitems (each used slot assigned as a record, each free slot cleared),
// 500 checklists, 18 inspections, 5 testers of 12 (names with control characters
// turned into blanks, then trimmed).
void unpackCheckitems(const std::uint8_t *area, TInstrDatabase &db);
void unpackChecklists(const std::uint8_t *area, TTestProcList &checklists);
void unpackAutosequences(const std::uint8_t *area, std::vector<Tautosequence> &inspections,
                         std::vector<TuserTester> &testers);

// Cleaning copy of one autosequence (titles cut and cleaned, items ended at the first 0).
void cleanAutosequence(const Tautosequence &source, Tautosequence &target);
}
