#pragma once
// The upload / download parameter record: settings, selection bits and the three
// data areas in the analyzer's block layout. Large (185 KB): allocate on the heap.
#include "TcommSettings.h"
#include "TInstrDatabase.h"
#include "TTestProc.h"
#include "Tautosequence.h"
#include "TransferImages.h"
#include <vector>

enum TransferSelection : std::uint8_t {
    SelectCheckitems = 1,
    SelectChecklists = 2,
    SelectAutosequences = 4,
    SelectAll = 7,
};

#pragma pack(push, 1)
struct TtransferHeader {
    TcommSettings settings;
    std::uint8_t reserved[12] = {};
};
struct TtransferData {
    TtransferHeader header;
    std::uint8_t selection = 0;
    std::uint8_t checkitems[TransferImages::CheckitemBytes];
    std::uint8_t spare = 0;
    std::uint8_t checklists[TransferImages::ChecklistBytes];
    std::uint8_t autosequences[TransferImages::AutosequenceBytes];
};
#pragma pack(pop)
static_assert(sizeof(TtransferHeader) == 52);
static_assert(offsetof(TtransferData, selection) == 52);
static_assert(offsetof(TtransferData, checkitems) == 53);
static_assert(offsetof(TtransferData, checklists) == 53 + 45936 + 1);
static_assert(offsetof(TtransferData, autosequences) == 53 + 45936 + 1 + 132000);
static_assert(sizeof(TtransferData) == 52 + 1 + 45936 + 1 + 132000 + 7128);

class TtransferRecord {
public:
    // Pointers to the frame's containers, in the frame's order.
    TtransferRecord(TInstrDatabase *checkitems, TTestProcList *checklists,
                    std::vector<TuserTester> *userTesters, std::vector<Tautosequence> *inspections);
    virtual ~TtransferRecord() = default;
    TtransferRecord(const TtransferRecord &) = delete;
    TtransferRecord &operator=(const TtransferRecord &) = delete;

    TcommSettings &settings() { return data.header.settings; }
    // Called by the download worker after a completed download.
    virtual void completeTransfer() {}

    TtransferData data{};

protected:
    TInstrDatabase *m_checkitems;
    TTestProcList *m_checklists;
    std::vector<TuserTester> *m_userTesters;
    std::vector<Tautosequence> *m_inspections;
};

// Upload: the areas are filled from the containers at construction.
class TuploadCommStruct : public TtransferRecord {
public:
    TuploadCommStruct(TInstrDatabase *checkitems, TTestProcList *checklists,
                      std::vector<TuserTester> *userTesters, std::vector<Tautosequence> *inspections);
};

// Download: completeTransfer() copies the selected areas back into the containers.
class TdownloadCommStruct : public TtransferRecord {
public:
    using TtransferRecord::TtransferRecord;
    void completeTransfer() override;
};
