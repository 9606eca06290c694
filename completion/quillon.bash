# Completion of quillon's command line for bash; source this file.
_quillon() {
    local word=${COMP_LINE:0:COMP_POINT}
    word=${word##* }
    case $word in
        -config=* | -Log=* | -report=* | -Script=* | -Output=* | -LogName=*)
            mapfile -t COMPREPLY < <(compgen -f -- "${word#*=}")
            return ;;
    esac
    local all="-config= -silent -Q -Log= -Edition= -help= -version -check -check=connect -only= -from= -report= -Type= -DSN= -Query= -Login= -Password= -Script= -Header= -Output= -LogName= -help=ChangeDataType -help=CopyFile -help=CopyFolder -help=DDLScript -help=Database -help=DatabaseContent -help=DatabaseQuery -help=DatabaseSchema -help=DatabaseTable -help=DeleteFile -help=DeleteFolder -help=ExcelFile -help=HtmlFile -help=HttpCall -help=JSONFile -help=MoveFile -help=MoveFolder -help=ODBCDataSourcesList -help=ODBCDriverList -help=OledbProvidersList -help=RTFFile -help=RemoveColumn -help=RenameColumn -help=ReplaceString -help=SQLScript -help=TextFile -help=WriteFile -help=XMLFile -help=keys"
    mapfile -t COMPREPLY < <(compgen -W "$all" -- "$word")
    # The part before a "=" stands on the line already.
    [[ $word == *=* ]] && COMPREPLY=("${COMPREPLY[@]#*=}")
    [[ ${COMPREPLY[0]} == *= ]] && compopt -o nospace
}
complete -F _quillon quillon
