# Completion of brisklet-render for fish.
complete -c brisklet-render -f
complete -c brisklet-render -k -a '(__fish_complete_suffix .json)'
complete -c brisklet-render -l still -r -k -a '(__fish_complete_suffix .png)' -d 'Make one picture of the scene'
complete -c brisklet-render -l at -x -a end -d 'The moment of the picture, in seconds'
complete -c brisklet-render -l soundtrack -r -k -a '(__fish_complete_suffix .wav)' -d 'Write the sound as a WAV file'
complete -c brisklet-render -l into -x -a '(__fish_complete_directories)' -d 'Make one movie per scene in this directory'
complete -c brisklet-render -s q -l quiet -d 'Show no progress'
complete -c brisklet-render -l verbose -d 'Tell every step and its time'
complete -c brisklet-render -s h -l help -d 'Show the usage'
complete -c brisklet-render -l version -d 'Show the version'
