#pragma once

#include "ingest/feed_fixture.h"
#include "ingest/ingv_source.h"

namespace tremor::testing {

class IngvFixture : public FeedFixture {
  protected:
    std::string target() const { return folder.file("eventsINGV.csv"); }

    // Imports a document as if it had just been fetched.
    void read(std::string_view document) {
        writeText(target(), document);
        source.readCsvIngv();
    }

    IngvSource source{context, download};
};

inline constexpr std::string_view impossible = "Impossible connect to INGV source, try later.";

} // namespace tremor::testing
