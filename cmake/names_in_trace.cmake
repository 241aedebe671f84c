# quor_names_in_trace(TARGET): stacks and throwing places in the trace name the functions of a program.
# The program exports them, and GCC leaves each throw in its function instead of a part without a name.
function(quor_names_in_trace target)
    set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)
    target_compile_options(
        ${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-reorder-blocks-and-partition>)
endfunction()
