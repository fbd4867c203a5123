# Configures the project SOURCE with OPTIONS, builds it in WORK and runs its PROGRAM there.
cmake_minimum_required(VERSION 3.25)

file(MAKE_DIRECTORY "${WORK}")
execute_process(COMMAND "${CMAKE_COMMAND}" --fresh -S "${SOURCE}" -B "${WORK}" ${OPTIONS}
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${CMAKE_COMMAND}" --build "${WORK}" COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${WORK}/${PROGRAM}" WORKING_DIRECTORY "${WORK}"
    COMMAND_ERROR_IS_FATAL ANY)
