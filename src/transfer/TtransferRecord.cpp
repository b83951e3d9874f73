#include "TtransferRecord.h"

TtransferRecord::TtransferRecord(TInstrDatabase *checkitems, TTestProcList *checklists,
                                 std::vector<TuserTester> *userTesters, std::vector<Tautosequence> *inspections)
    : m_checkitems(checkitems), m_checklists(checklists), m_userTesters(userTesters), m_inspections(inspections)
{
}

TuploadCommStruct::TuploadCommStruct(TInstrDatabase *checkitems, TTestProcList *checklists,
                                     std::vector<TuserTester> *userTesters, std::vector<Tautosequence> *inspections)
    : TtransferRecord(checkitems, checklists, userTesters, inspections)
{
    if (m_checkitems)
        TransferImages::packCheckitems(*m_checkitems, data.checkitems);
    if (m_checklists)
        TransferImages::packChecklists(*m_checklists, data.checklists);
    if (m_inspections && m_userTesters)
        TransferImages::packAutosequences(*m_inspections, *m_userTesters, data.autosequences);
}

void TdownloadCommStruct::completeTransfer()
{
    if ((data.selection & SelectCheckitems) && m_checkitems)
        TransferImages::unpackCheckitems(data.checkitems, *m_checkitems);
    if ((data.selection & SelectChecklists) && m_checklists)
        TransferImages::unpackChecklists(data.checklists, *m_checklists);
    if ((data.selection & SelectAutosequences) && m_inspections && m_userTesters)
        TransferImages::unpackAutosequences(data.autosequences, *m_inspections, *m_userTesters);
}
