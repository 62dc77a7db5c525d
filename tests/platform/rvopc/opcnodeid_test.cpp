#include "platform/rvopc/opcnodeid.h"

#include <gtest/gtest.h>

TEST(OpcNodeId, EachFormIsTaken) {
    for (const char* pText :
         {"s=Request", "i=2259", "ns=2;s=PreBalancing.Request", "ns=65535;i=4294967295", "ns=3;s=a;b=c",
          "ns=1;g=C3097EE1-C8F9-B011-8303-53fdecad35c8", "ns=1;b=M/RbKBsRVkePCePcx24oRA==", "b=QUI=", "b=QUI",
          "b=Q+8v", "nsu=urn:corvane:pre-balancing;s=PreBalancing.Request", "nsu=http://nc/a%3Bb;i=1"}) {
        EXPECT_TRUE(IsOpcNodeId(pText)) << pText;
    }
}

TEST(OpcNodeId, WhatAServerCouldNotFindIsNone) {
    for (const char* pText : {"",
                              "Request",
                              "s=",
                              "x=1",
                              "i=",
                              "i=-1",
                              "i=4294967296",
                              "i=12x",
                              "ns=2",
                              "ns=;s=a",
                              "ns=65536;s=a",
                              "ns=-1;s=a",
                              "ns=2;Request",
                              "ns=2;s=",
                              "nsu=;s=a",
                              "nsu=urn:nc",
                              "ns=2;nsu=urn:nc;s=a",
                              "ns=2,s=a",
                              "g=C3097EE1C8F9B011830353FDECAD35C8",
                              "g=",
                              "b=M/!",
                              "b=QU-_",
                              "b=Q===",
                              "b=QQ=I",
                              "b=QUJD=",
                              "b===",
                              "s",
                              " s=a"}) {
        EXPECT_FALSE(IsOpcNodeId(pText)) << pText;
    }
}
