#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/flextablepage.h"

class FlexTableTest : public testing::Test, protected CFlexTablePage {
protected:
    std::string GetText(unsigned Row) const {
        std::string Text;
        EXPECT_TRUE(m_Table.GetItemData(Row, 0, Text)) << Row;
        return Text;
    }
    double GetNumber(unsigned Row) const {
        double Number = -1.0;
        EXPECT_TRUE(m_Table.GetItemData(Row, 1, Number)) << Row;
        return Number;
    }
};
