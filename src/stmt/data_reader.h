// READ's walk over the DATA items, shared by READ and MAT READ.
#pragma once

struct DataItem;
struct DataReader;

// The next DATA item, the reader moved past it; null when the data are exhausted.
const DataItem* TakeDataItem(DataReader& reader);
