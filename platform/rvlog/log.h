#pragma once
// Logging macros. They test for a publisher and its level before anything is formatted.
#include "platform/rvlog/logcomponent.h"

#define RV_LOG(pPublisher, Mask, LevelName, ...)                                               \
    do {                                                                                       \
        if (((pPublisher) != nullptr) && (((pPublisher)->GetLevel() & (Mask)) != 0)) {         \
            (pPublisher)->Log(__FILE__, __LINE__, __func__, (Mask), (LevelName), __VA_ARGS__); \
        }                                                                                      \
    } while (false)

#define RV_ERROR(pPublisher, ...) RV_LOG(pPublisher, CLogComponent::ERROR, "Error", __VA_ARGS__)
#define RV_WARNING(pPublisher, ...) RV_LOG(pPublisher, CLogComponent::WARNING, "Warning", __VA_ARGS__)
#define RV_INFORMATION(pPublisher, ...) \
    RV_LOG(pPublisher, CLogComponent::INFORMATION, "Information", __VA_ARGS__)
#define RV_DEBUG(pPublisher, ...) RV_LOG(pPublisher, CLogComponent::DEBUG, "Debug", __VA_ARGS__)

/// Asserts with an expression text of its own; bShow adds a message box. Never changes the flow.
#define RV_ASSERT_AS(pPublisher, Condition, ExpressionText, Text, bShow)                              \
    do {                                                                                              \
        if (!(Condition) && ((pPublisher) != nullptr)) {                                              \
            (pPublisher)->LogAssert(__FILE__, __LINE__, __func__, (ExpressionText), (Text), (bShow)); \
        }                                                                                             \
    } while (false)

/// Asserts an expression: logs it with the text when it is false, and goes on.
#define RV_ASSERT(pPublisher, Expression, Text) \
    RV_ASSERT_AS(pPublisher, (Expression), #Expression, Text, false)
/// The same, also shown to the operator.
#define RV_ASSERT_SHOW(pPublisher, Expression, Text) \
    RV_ASSERT_AS(pPublisher, (Expression), #Expression, Text, true)
/// A path that must not be reached.
#define RV_ASSERT_FAIL(pPublisher, Text) RV_ASSERT_AS(pPublisher, false, "FALSE", Text, false)
