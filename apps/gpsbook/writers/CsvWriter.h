// CsvWriter: the point table as comma-separated text (RFC 4180 quoting, LF line ends, UTF-8).
#pragma once

#include "apps/gpsbook/writers/RowWriter.h"
#include "apps/gpsbook/writers/TextOutput.h"

namespace gpsbook {

/// One header line, then a line a row. An unset number is an empty cell.
class CsvWriter : public RowWriter {
public:
    /// Errors: WriteError as StagedOutput reports it.
    explicit CsvWriter(const RowOutput& output);

    void Write(const PointRow& row) override;
    void Close() override;

private:
    TextOutput out_;
};

}  // namespace gpsbook
