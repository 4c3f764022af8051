#error "This is another package's header, which a caller of samltoken must not get."
