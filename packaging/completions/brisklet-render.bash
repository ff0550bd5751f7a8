# Completion of brisklet-render for bash.
_brisklet_render() {
  local cur prev words cword
  _init_completion || return

  local word files=0 into='' previous=''
  for word in "${words[@]:1:cword-1}"; do
    case $previous in
      --still | --at | --soundtrack | --into | --jobs | --page) ;;
      *) [[ $word == -?* ]] || files=$((files + 1)) ;;
    esac
    [[ $word == --into ]] && into=1
    previous=$word
  done

  case $prev in
    --still) _filedir png; return ;;
    --soundtrack) _filedir wav; return ;;
    --into) _filedir -d; return ;;
    --page) COMPREPLY=($(compgen -W '1080x1920 1080x1350 1080x1080 1920x1080' -- "$cur")); return ;;
    --jobs) COMPREPLY=($(compgen -W "$(seq "$(nproc)")" -- "$cur")); return ;;
    --at) COMPREPLY=($(compgen -W end -- "$cur")); return ;;
  esac
  if [[ $cur == -* ]]; then
    COMPREPLY=($(compgen -W '--motion --page --still --at --soundtrack --into --jobs --keep --quiet --verbose --help --version' -- "$cur"))
  elif [[ $into || $files -eq 0 ]]; then
    _filedir json
  else
    _filedir mp4
  fi
} && complete -F _brisklet_render brisklet-render
