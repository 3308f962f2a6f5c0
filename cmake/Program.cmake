# The program's folders: the Windows CE API, the windowing framework and each other, nothing else.
# The link reports to the wizard (wizard/DvrReports.h) and the notice reads the wizard's step, so
# some folders name each other; static libraries allow that.
tolvane_folder(app/log DEPENDS platform_api)
tolvane_folder(app/thread DEPENDS platform_api)
tolvane_folder(MStar_C4 DEPENDS app_log platform_api)
tolvane_folder(power DEPENDS app_log app_thread platform_api)
tolvane_folder(dvrlink DEPENDS app_log app_thread platform_api wizard)
tolvane_folder(ui DEPENDS res app_log platform_api platform_framework wizard)
tolvane_folder(wizard DEPENDS res app_log platform_api platform_framework dvrlink ui power MStar_C4)
tolvane_folder(app DEPENDS res platform_api platform_framework wizard dvrlink)

# The folders see the API's headers; only the linker sees the platform that implements them.
foreach(folder app app_thread wizard dvrlink power ui MStar_C4)
    foreach(part kernel window gdi device resource powermgr)
        target_link_libraries(${folder} INTERFACE $<LINK_ONLY:platform_${part}>)
    endforeach()
endforeach()

# The module that the windows belong to is defined with the program's entry.
target_link_libraries(wizard INTERFACE $<LINK_ONLY:app>)

# Without optimisation, so that each line has a count of its own; atomic, as threads count together.
if(TOLVANE_COVERAGE)
    foreach(folder app app_thread wizard dvrlink power ui MStar_C4)
        target_compile_options(${folder} PRIVATE --coverage -fprofile-update=atomic -O0)
        target_link_options(${folder} INTERFACE --coverage)
        # They cannot read headers that were precompiled with optimisation.
        set_target_properties(${folder} PROPERTIES DISABLE_PRECOMPILE_HEADERS ON)
    endforeach()
endif()
