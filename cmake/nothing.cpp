// Nothing but the precompiled headers comes from here.
