# Windows, drawing, event loop, links, SQL drivers, texts and the gateway's process on Qt 6.
set_target_properties(corvane_platform PROPERTIES AUTOMOC ON)
target_link_libraries(corvane_platform PRIVATE Qt6::Core Qt6::Gui Qt6::Widgets Qt6::Sql Qt6::SerialPort Qt6::Network)

# Texts: a .ts file per language, compiled into the library.
file(GLOB TEXT_FILES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/texts/*.ts)
if(TEXT_FILES)
    qt_add_translations(corvane_platform
        TS_FILES ${TEXT_FILES}
        RESOURCE_PREFIX /texts
        LRELEASE_OPTIONS -idbased)
endif()
