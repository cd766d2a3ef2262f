if(QUORIX_SANITIZE)
    add_compile_options(-fsanitize=${QUORIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${QUORIX_SANITIZE})
endif()
if(QUORIX_FUZZ)
    # The fuzzer is told which branches were taken, and whoever asks which lines.
    add_compile_options(-fsanitize=fuzzer-no-link -fprofile-instr-generate -fcoverage-mapping)
    add_link_options(-fprofile-instr-generate)
endif()
