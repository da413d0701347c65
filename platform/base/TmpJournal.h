// TmpJournal: where the changed and deleted items of a library go between two saves.
#pragma once

#include "platform/base/PlatformExport.h"
#include "platform/base/streams.h"

/// The host's journal of one project. A library reaches it through CLibGen::GetFileOutTmp.
class GPS_PLATFORM_API TmpJournal {
public:
    TmpJournal() = default;
    TmpJournal(const TmpJournal&) = delete;
    TmpJournal& operator=(const TmpJournal&) = delete;
    virtual ~TmpJournal();

    /// Begins an entry of the project whose file is `file`. The stream carries the entry's version, which
    /// stands in it already. Null when there can be no entry: another one is open, or the journal does not
    /// take any.
    virtual ofpstream* Open(const char* file, int code) = 0;

    /// Ends the entry that Open began.
    virtual void Close(ofpstream* entry) = 0;

    /// Gives the entry up: nothing of it is noted.
    virtual void Discard(ofpstream* entry) = 0;
};
