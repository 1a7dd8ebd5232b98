// ltr27api.dll has no code of its own: it forwards its exports to ltrapi.dll, so that both libraries show one
// installation.
