#pragma once

/// Type numbers of a flex table's cells.
class CFlexTableTypes {
public:
    enum Type { eString = 0, eDouble = 1 };
};
