#pragma once

#include "ingest/import_fixture.h"
#include "ingest/ingv_source.h"
#include "ingest/scripted_transfer.h"

namespace tremor::testing {

using Texts = std::vector<std::string>;

class IngvFixture : public ImportFixture {
  protected:
    std::string target() const { return folder.file("eventsINGV.csv"); }

    // Imports a document as if it had just been fetched.
    void read(std::string_view document) {
        writeText(target(), document);
        source.readCsvIngv();
    }

    ScriptedTransfer transfer;
    int unloads = 0;
    PanelDownload download{session, status, clock, transfer, [this] { ++unloads; }};
    IngvSource source{context, download};
};

inline constexpr std::string_view impossible = "Impossible connect to INGV source, try later.";

} // namespace tremor::testing
